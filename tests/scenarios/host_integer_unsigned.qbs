# A host build whose integer arguments are unsigned long long (Q): the same
# width as the hooks' own, so nothing changes for the user.
host variant ints-unsigned
host variant callkit-end-reportended
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
call voice bob
expect no-ringing bob
wait 0.2
expect log "[QB] CallKit reportCallEnded"
expect no-log " ex: "
expect no-ringing bob
