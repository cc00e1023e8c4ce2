# A side-loaded app has the library only in its own process: nothing guards
# the lock screen while it sleeps, and a secret's message shows there. This
# is the documented limit of such installs.
friend bob nick=Bob
secret bob
install sideload
launch
background
message bob "while leaving"
expect no-banner bob
wait 10
expect app suspended
message bob "while asleep"
expect banner bob
expect sound bob
expect lockscreen bob
