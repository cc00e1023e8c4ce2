# In mode 0 nothing of a hidden secret's may stay on the lock screen. What
# Notification Center got while the secrets were shown is removed when they
# hide: the end of a show window, a contact made secret later, a cold start.
# Mode 1 keeps them: the user chose to be told.
friend alice nick=Alice
friend bob nick=Bob
friend carol nick=Carol
session alice
session bob
session carol
secret bob
setting visibilityControl 1
setting dailyWindows 08:00-22:00 show
clock 21:58
launch
wait 2
expect revealed

# Delivered in the background while the window shows the secrets.
background
message bob "see you at ten"
message alice "lunch?"
message carol "hi"
expect lockscreen carol alice bob

# The window ends with the app open: bob's goes, the others stay.
foreground
wait 120
expect hidden
expect lockscreen carol alice
expect log "[QB] removed 1 delivered notification(s)"

# While hidden in mode 0, a secret's message never reaches it, whether the
# app is awake or asleep.
background
message bob "still up?"
expect lockscreen carol alice
wait 10
expect app suspended
message bob "asleep?"
expect lockscreen carol alice
foreground

# A contact made secret after its notifications came.
secret carol
expect lockscreen alice

# A cold start sweeps what a run that ended while they were shown left
# behind: here mode 0 was chosen while the app was not running.
quit
setting visibilityControl 0
setting secretNotifyMode 1
launch
background
message bob "mode one"
expect lockscreen bob alice
quit
setting secretNotifyMode 0
launch
expect hidden
expect lockscreen alice
