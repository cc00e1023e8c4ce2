# The panel's rows save at once: notify modes, switches, the password, and a
# secret swiped off the list; a cold start shows the same panel. Dragging the
# sheet away closes the panel as 完成 does.
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
secret bob
launch
wait 2
expect hidden
open about
wait 1
tap page
tap page
tap page
tap page
tap page
type 7351
press 确定
wait 1
expect screen panel
expect revealed
panel tap 3 1
expect row 3 1 "震动" checked
expect file secretNotifyMode 1
expect file backgroundNotify true
panel tap 3 2
expect file backgroundNotify false
panel switch 4 0 on
expect file voipVoiceNotify true
panel switch 2 0 off
expect file shakeHide false
panel tap 5 2
expect alert "设置新口令"
type 123
press 确定
expect file password "7351"
panel tap 5 2
type 2468
press 确定
expect file password "2468"
panel delete 7 1
expect rows 7 1
expect file secrets []
panel dismiss
expect screen about
# Dragging the sheet away closes the panel as 完成 does.
wait 1
expect hidden
background
wait 5
foreground
wait 1
expect hidden
quit
launch
wait 2
open about
wait 1
tap version
tap version
tap version
tap version
tap version
type 2468
press 确定
wait 1
expect row 3 2 "不通知" checked
expect row 4 0 "微信电话" on
expect row 2 0 "轻晃隐藏" off
