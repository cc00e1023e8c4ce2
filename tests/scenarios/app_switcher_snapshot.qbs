# The picture the app switcher keeps of the app never shows a secret chat:
# neither after a reveal, nor when the app leaves while a reveal settles, nor
# in schedule mode while a window shows them.
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
secret bob
launch
wait 2
shake
type 7351
press 确定
wait 3
expect main alice bob
background
expect snapshot alice
show snapshot
foreground
wait 1
expect main alice

wait 1
shake
type 7351
press 确定
wait 0.6
expect revealed
background
expect snapshot alice
foreground
wait 3
expect hidden

# Schedule mode: even while a window shows the secrets, the picture leaves
# them out; back in the app, the window still open, they are shown again.
setting visibilityControl 1
setting dailyWindows 00:00-23:59 show
wait 31
expect revealed
expect main alice bob
background
expect snapshot alice
expect revealed
foreground
wait 1
expect main alice bob

# The window ends while the app is away: the picture never showed the secret,
# and the app comes back hidden.
clock 12:00
setting dailyWindows 12:00-12:02 show
wait 31
expect revealed
background
expect snapshot alice
wait 120
foreground
wait 1
expect hidden
expect main alice
