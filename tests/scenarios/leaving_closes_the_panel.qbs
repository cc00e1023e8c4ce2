# Leaving the app hides the secrets whatever of the panel is on screen: its
# password prompt (typed or not), the moment its check has passed, the panel
# itself with the picker or a window dialog on top, and after the sheet was
# dragged away. On return neither prompt nor panel is there; five taps open
# it again.
friend alice
friend bob
secret bob
launch
session bob
session alice
wait 2
shake
type 7351
press 确定
wait 2
expect main alice bob

# The prompt is up: an hour later nobody finds it, or the secrets.
open about
wait 1
tap version
tap version
tap version
tap version
tap version
expect alert "验证身份"
background
expect snapshot
wait 3600
foreground
wait 1
expect screen about
expect hidden
open main
expect main alice

# A wrong password typed, its answer still on the way.
shake
type 7351
press 确定
wait 2
open about
wait 1
tap version
tap version
tap version
tap version
tap version
type 0000
press 确定
background
wait 60
foreground
wait 1
expect screen about
expect hidden

# The right one typed: the panel was about to appear, and does not.
shake
type 7351
press 确定
wait 2
expect revealed
open about
wait 1
tap version
tap version
tap version
tap version
tap version
type 7351
press 确定
wait 0.5
background
foreground
wait 2
expect screen about
expect hidden

# The panel open, then the picker on it.
tap version
tap version
tap version
tap version
tap version
type 7351
press 确定
wait 1
expect screen panel
expect revealed
panel tap 7 0
expect screen picker
background
foreground
wait 1
expect screen about
expect hidden
open main
expect main alice

# Dragged away: closed as 完成 closes it, so leaving later finds nothing to hide.
open about
wait 1
tap version
tap version
tap version
tap version
tap version
type 7351
press 确定
wait 1
panel dismiss
wait 1
expect hidden
background
foreground
wait 1
open main
expect main alice

# Schedule mode, outside its window: the window editor's dialog is up.
setting visibilityControl 1
setting dailyWindows 01:00-02:00 show
open about
wait 1
tap version
tap version
tap version
tap version
tap version
type 7351
press 确定
wait 1
expect revealed
panel tap 2 0
expect alert "① 修改开始时间"
background
foreground
wait 2
expect screen about
expect hidden
open main
expect main alice
