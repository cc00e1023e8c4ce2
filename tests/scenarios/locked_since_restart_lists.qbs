# The phone restarted and is not unlocked yet, and a push starts the app: it
# draws its lists, and the app switcher keeps a picture of them. Only the
# salted hashes beside the settings say who is secret, and the lists hide by
# them as they do by name once the settings can be read.
friend alice nick=Alice
friend bob nick=Bob
friend carol nick=Carol
session bob
session alice
session carol
secret bob
secret carol
setting password 2468
device locked
launch
wait 2
expect hidden
expect main alice
open contacts
expect contacts alice
open main
background
expect snapshot alice

device unlock
expect log "[QB] config read after first unlock"
foreground
wait 1
expect hidden
expect main alice
open contacts
expect contacts alice
open main

# The password is the file's, read after the unlock.
shake
type 7351
press 确定
wait 0.5
expect hidden
wait 1
shake
type 2468
press 确定
wait 0.5
expect revealed
wait 1
expect main carol alice bob
expect no-log " ex: "
