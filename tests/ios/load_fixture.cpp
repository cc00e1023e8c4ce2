// An executable for the load-command tool's tests: a little code and data,
// linked against the product's libraries like an app's executable.
#include <stdio.h>
#include <string.h>

int main(int argc, char** argv) {
  char line[64];
  snprintf(line, sizeof line, "%d %s", argc, argv[0]);
  return static_cast<int>(strlen(line));
}
