# Mode 0 while the app sleeps: once the grace after leaving is over the app
# is suspended, and a message reaches the phone as a remote notification
# that SpringBoard presents by itself. A secret's shows nothing anywhere, a
# friend's shows as usual; the same once the app is not running at all.
friend alice nick=Alice
friend bob nick=Bob
session alice
session bob
secret bob
launch
background
expect app running
wait 4
expect app running
wait 2
expect app suspended
message bob "asleep"
expect no-banner bob
expect no-sound bob
expect no-vibration bob
message alice "asleep too"
expect banner alice
expect sound alice
expect lockscreen alice
quit
expect app not-running
message bob "not running"
expect no-banner bob
expect no-sound bob
expect no-vibration bob
message alice "still here"
expect banner alice
expect lockscreen alice alice
# Back in the app the chat is there, hidden as ever.
launch
expect hidden
expect main alice
expect no-log "bob"
