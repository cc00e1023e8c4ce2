# The window editor's first dialog, for the README (scripts/pictures.sh).
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
secret bob
launch
wait 2
open about
wait 1
tap page
tap page
tap page
tap page
tap page
type 7351
press 确定
wait 1
panel tap 0 1
panel tap 2 1
wait 1
time 22:30
picture @OUT@/window-editor.png
