# Modes 1 and 2 leave what Notification Center holds when the secrets hide:
# the user chose to be told. Mode 0 chosen later sweeps on the next hide.
friend alice nick=Alice
friend bob nick=Bob
session alice
session bob
secret bob
setting secretNotifyMode 1
launch
background
message bob "ping"
message alice "pong"
expect lockscreen alice bob
foreground
shake
type 7351
press 确定
wait 1
expect revealed
background
wait 2
expect hidden
expect lockscreen alice bob
quit
launch
expect lockscreen alice bob
setting secretNotifyMode 0
shake
type 7351
press 确定
wait 1
background
wait 2
expect hidden
expect lockscreen alice
