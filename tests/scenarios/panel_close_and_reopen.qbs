# Closing the panel hides at once, the main list included, not half a second
# later; five taps during the closing animation start a new way in that the
# old close does not undo.
friend alice
friend bob
session bob
session alice
secret bob
launch
wait 2
shake
type 7351
press 确定
wait 2
expect main alice bob
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
panel done
wait 0.35
expect hidden
expect main alice

# Again, and straight back in: the new prompt is answered and the panel opens.
tap version
tap version
tap version
tap version
tap version
type 7351
press 确定
wait 1
panel done
tap version
tap version
tap version
tap version
tap version
expect alert "验证身份"
wait 0.4
expect alert "验证身份"
type 7351
press 确定
wait 1
expect screen panel
expect revealed
panel done
wait 1
expect hidden
expect main alice
