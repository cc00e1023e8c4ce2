# A show window that ends while the app is suspended: the app cannot sweep
# what Notification Center got while the secrets were shown until it runs
# again; it does so as soon as it resumes. What comes after the window is
# kept off the lock screen by SpringBoard meanwhile.
friend alice nick=Alice
friend bob nick=Bob
secret bob
setting visibilityControl 1
setting dailyWindows 08:00-22:00 show
clock 21:58
launch
wait 2
expect revealed
background
message bob "see you at ten"
message alice "lunch?"
expect lockscreen alice bob
wait 120
expect app suspended
expect lockscreen alice bob
message bob "late"
expect no-banner bob
expect lockscreen alice bob
foreground
wait 1
expect hidden
expect lockscreen alice
