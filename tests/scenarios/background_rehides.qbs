# Manual mode: leaving the app hides revealed secrets again, once for the whole
# burst of notifications a departure sends. (A schedule window stands in for
# the reveal here; switching back to manual keeps them revealed until then.)
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
secret bob
setting dailyWindows 00:00-23:59 show
setting visibilityControl 1
launch
wait 2
expect revealed
setting visibilityControl 0
background
expect hidden
expect log "[QB] auto-lock UISceneWillDeactivateNotification"
expect no-log "[QB] auto-lock UIApplicationWillResignActiveNotification"
foreground
wait 1
expect main alice
