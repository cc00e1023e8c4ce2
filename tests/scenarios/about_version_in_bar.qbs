# A host build whose About page shows its version label in the band its
# navigation bar covers. The label gets the entry's recognizer, but the bar
# lies over it and takes every tap there, so each tap counts once: four taps
# open nothing, the fifth asks for the password, and the panel opens once.
host variant about-version-in-bar
friend alice nick=Alice
session alice
launch
wait 2

open about
wait 1
tap version
tap version
tap version
tap version
expect screen about
tap version
expect screen alert
type 7351
press 确定
wait 1
expect screen panel
panel done
wait 1
expect screen about
expect hidden

# Taps on the label and on the bar beside it feed the same series.
tap version
tap nav 90
tap version
tap nav -90
expect screen about
tap version
expect screen alert
press 取消
wait 1
expect screen about
expect no-log " ex: "
expect no-leaks
