# The phone restarted and is not unlocked yet: a message and a call from a
# secret wake the app. The settings file cannot be read, so the gating works
# from the hashes beside it: no banner, no ringing. Nothing the process does
# meanwhile writes over the file; after the first unlock it is read, and the
# panel's changes are saved again.
friend alice nick=Alice
friend bob nick=Bob
secret bob
setting password 2468
device locked
launch
background
expect log "[QB] config protected until first unlock"
message bob "hi"
expect no-banner bob
expect no-sound bob
message alice "hi"
expect banner alice
call voice bob
expect no-ringing bob
wait 0.2
expect log "[QB] CallKit requestEndCallTrans"
call video alice
expect ringing alice
wait 31
secret carol
expect log "[QB] config save refused"
device unlock
expect log "[QB] config read after first unlock"
expect file secrets [bob]
expect file password 2468
foreground
wait 1
expect hidden
expect main alice
secret carol
expect file secrets [bob carol]
expect file password 2468
expect no-log " ex: "
message bob "again"
expect no-banner bob
