# The first secret is chosen while the app is not running, after SpringBoard
# has already looked for the app's gate and found none: the new gate is
# found at once, not a minute later.
friend alice nick=Alice
friend dave nick=Dave
launch
quit
message alice "hi"
expect banner alice
secret dave
message dave "hello?"
expect no-banner dave
expect no-sound dave
expect lockscreen alice
