# The user opens About and backs out within a fraction of a second, before
# the entry's late attaches (0.4 s and 0.6 s) and the host's own late labels.
# The page is freed with the navigation stack that owned it; the late work
# finds it gone, and the host goes on as before.
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
launch
wait 2

open about
wait 0.2
open main
wait 2
expect screen main
expect main alice bob

# Twice more, at the edges of the delays.
open about
wait 0.4
open contacts
wait 0.3
open main
open about
wait 0.1
open main
wait 2
expect screen main

# A new page still has its entry: five taps ask for the password.
open about
wait 1
tap version
tap version
tap nav 90
tap page 250
tap version
expect screen alert
press 取消
wait 1
expect no-log " ex: "
expect screen about
expect no-leaks
