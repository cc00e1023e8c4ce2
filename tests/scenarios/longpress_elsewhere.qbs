# A long press counts on the chat list's navigation bar and a chat's, which
# share one navigation controller. Moments under 发现 and the About page under
# 我 have bars of their own: a press there asks for nothing.
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
moment alice
secret bob
launch
wait 1
open moments
longpress
expect screen moments
expect no-log "[QB] show auth from longPress"
open about
wait 1
longpress
expect screen about
expect no-log "[QB] show auth from longPress"
open main
wait 1
longpress
expect log "[QB] show auth from longPress"
expect screen alert
press 取消
expect hidden
