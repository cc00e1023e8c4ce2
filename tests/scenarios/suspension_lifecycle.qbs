# The app's life as iOS runs it. A few seconds after leaving it is
# suspended; a VoIP push wakes it for a call and it sleeps again after the
# grace; a call while it is not running launches it in the background.
friend alice nick=Alice
friend bob nick=Bob
secret bob
expect app not-running
launch
expect app running
background
wait 6
expect app suspended
call voice alice
expect app running
expect ringing alice
wait 31
expect no-ringing alice
expect app suspended
foreground
expect app running
expect hidden
quit
call video bob
expect app running
expect no-ringing bob
wait 6
expect app suspended
foreground
expect screen main
expect hidden
