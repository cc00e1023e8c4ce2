# A phone restarted and not yet unlocked: the app is not running and its
# settings cannot be read, but SpringBoard reads the gate, which is written
# without data protection, and a secret's message shows nothing.
friend alice nick=Alice
friend bob nick=Bob
secret bob
launch
quit
device locked
message bob "before unlock"
expect app not-running
expect no-banner bob
expect no-sound bob
message alice "hi"
expect banner alice
expect lockscreen alice
device unlock
message bob "after unlock"
expect no-banner bob
