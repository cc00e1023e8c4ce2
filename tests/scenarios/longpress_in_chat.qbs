# A long press on a chat's navigation bar: reveal after the password, and a
# second long press while revealed hides without asking. "取消" leaves
# everything hidden.
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
secret bob
launch
open chat alice
expect screen chat
wait 1
longpress
expect log "[QB] show auth from longPress"
press 取消
expect hidden
expect screen chat
wait 1
longpress
type 7351
press 确定
wait 0.5
expect revealed
wait 2
longpress
expect hidden
open main
wait 1
expect main alice
