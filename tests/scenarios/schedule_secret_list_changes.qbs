# In schedule mode a change of the secret list re-applies the schedule at
# once: after the panel emptied the list (its reveal lingers with nobody to
# show), a secret added later is hidden at once, not at the next tick.
friend alice
friend bob
session bob
session alice
secret bob
setting visibilityControl 1
setting dailyWindows 01:00-02:00 show
launch
wait 2
expect hidden
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
panel delete 7 1
expect rows 7 1
panel done
wait 1
secret bob
expect hidden
open main
wait 1
expect main alice
