# The settings and the gate file are in the phone's backups: after a restore
# (the container wiped and put back from the backup) the secrets start hidden
# and only the user's own password reveals them.
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
secret bob
setting password 2468
setting secretNotifyMode 1
launch
wait 2
expect main alice
device backup

# Changes after the backup are not in it.
secret alice
setting password 1357
device restore
expect file secrets [bob]
expect file password 2468
expect file secretNotifyMode 1

# The restore ended the app: this launch is a cold start.
launch
wait 2
expect hidden
expect main alice
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
expect main alice bob
