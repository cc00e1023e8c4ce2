# Host builds whose integer arguments are unsigned or 32 bits wide: every
# message and call hook still installs (in the host's width), a secret is
# still gated, and a blocked call is still ended through the end call that
# takes an integer.
host variant ints-32
host variant callkit-end-atdate
friend alice nick=Alice
friend bob nick=Bob
secret bob
launch
expect no-log "hook skipped"
message bob "hi"
expect no-banner bob
expect no-sound bob
message alice "hi"
expect banner alice
expect sound alice
background
message bob "later"
expect no-banner bob
message alice "later"
expect banner alice
call video bob
expect no-ringing bob
wait 0.2
expect log "[QB] CallKit reportCallEndedAtDate"
expect no-log " ex: "
setting secretNotifyMode 1
message bob "quiet"
expect banner bob
expect no-sound bob
expect vibration bob
