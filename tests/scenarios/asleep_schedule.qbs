# The schedule while the app sleeps: SpringBoard reads the windows from the
# gate beside the settings. A message inside a show window is shown; one
# after the window closed while the app slept is not.
friend alice nick=Alice
friend bob nick=Bob
secret bob
setting visibilityControl 1
setting dailyWindows 12:00-12:30 show
clock 12:10
launch
background
wait 60
expect app suspended
message bob "in the window"
expect banner bob
expect sound bob
wait 1800
expect app suspended
message bob "after it"
expect no-banner bob
expect no-sound bob
message alice "any time"
expect banner alice
expect lockscreen alice bob
