// A library the dylib check must reject: it reads errno the glibc way and
// calls a ui facade function that no backend defines.
namespace ui {
void notImplementedAnywhere(int);
}

extern "C" int* __errno_location();

__attribute__((constructor)) static void badEntry() {
  ui::notImplementedAnywhere(*__errno_location());
}
