# Before the first unlock the notify mode and the call switches come from
# the hashes' file too: mode 1 still vibrates only, and a secret's video call
# rings when the video switch is on.
friend bob nick=Bob
secret bob
setting secretNotifyMode 1
setting voipVideoNotify true
device locked
launch
background
message bob "quiet"
expect banner bob
expect no-sound bob
expect vibration bob
call video bob
expect ringing bob
wait 31
expect no-log " ex: "
call voice bob
expect no-ringing bob
