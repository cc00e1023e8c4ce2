# The user finds the hidden entry on the About page, opens the panel with the
# password, makes Bob secret through the contact picker, switches to the
# schedule and adds a window that hides the secrets across the night. After
# closing the panel at 23:00 Bob's chat is out of sight again.
friend alice nick=Alice
friend bob nick=Bob remark=老板
friend carol nick=Carol
session carol
session bob
session alice
clock 23:00
launch
wait 2
expect main alice bob carol

# Four taps a second apart on the version label do nothing yet; the fifth asks.
open about
expect screen about
wait 1
tap version
wait 1
tap nav 90
wait 1
tap page 250
wait 1
tap version
expect screen about
wait 1
tap version
expect screen alert
type 7351
press 确定
wait 1
expect screen panel
expect row 0 0 "手动控制" checked
expect rows 7 1

# The contact picker: search, pick, and the row shows it is taken.
panel tap 7 0
expect screen picker
picker search 老
picker pick bob
expect screen picker
show picker
picker back
expect screen panel
expect rows 7 2
expect row 7 1 "老板"
expect file secrets [bob]

# Schedule mode: section 1 empties, section 2 lists the windows.
panel tap 0 1
expect row 0 1 "定时控制" checked
expect rows 1 0
expect rows 2 2
panel tap 2 1
expect alert "① 选择开始时间"
time 22:00
press 确定
wait 0.4
expect alert "② 选择结束时间"
time 06:00
press 确定
wait 0.4
expect alert "③ 这段时间要"
press 隐藏
expect rows 2 3
expect row 2 1 "时段 2"
expect file visibilityControl 1
expect file dailyWindows [{start = 480; end = 1320; mode = 0}, {start = 1320; end = 360; mode = 1}]
show panel

# While the panel is open Bob is shown; closing hands over to the schedule.
expect revealed
panel done
wait 1
expect hidden
open main
expect main alice carol
