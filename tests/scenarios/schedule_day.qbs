# A day in schedule mode: the secrets show from 08:00 to 22:00 without any
# authentication, and are hidden outside that window. Leaving the app does not
# re-hide them in this mode: the schedule alone decides.
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
secret bob
setting visibilityControl 1
clock 07:59
launch
wait 2
expect hidden
expect main alice
expect no-log "[QB] schedule apply"
wait 60
expect revealed
expect log "[QB] schedule apply → show"
wait 1
expect main alice bob
background
wait 5
foreground
expect revealed
clock 21:59
wait 31
expect revealed
wait 60
expect hidden
expect log "[QB] schedule apply → hide"
wait 1
expect main alice
clock 22:01
wait 31
expect hidden
expect main alice
