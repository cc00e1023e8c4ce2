# Host builds that differ: the three-argument push, the ilink call banner,
# other message keys, and a VoipCXMgr that ends calls with reportCallEnded:.
# The secret is gated the same way in each.
host variant push-3arg
host variant ilink-calls
host variant message-keys-alt
host variant callkit-end-reportended
friend alice nick=Alice
friend bob nick=Bob
secret bob
launch
message bob "hi"
expect no-banner bob
message alice "hi"
expect banner alice
call voice bob
expect no-banner bob
call voice alice
expect banner alice
background
setting secretNotifyMode 1
message bob "quiet"
expect banner bob
expect no-sound bob
expect vibration bob
call voice bob
expect no-ringing bob
wait 0.2
expect log "[QB] CallKit reportCallEnded"
expect no-log " ex: "
expect no-ringing bob
