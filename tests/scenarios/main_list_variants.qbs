# Host builds that lean on different hooks: a session store that never asks
# whether a chat may show (the row and count hooks alone hide it), a list that
# reads its rows through the logic controller (nested hooks), and sessions
# that carry the username under the first probe key.
friend alice nick=Alice
friend bob nick=Bob
friend carol nick=Carol
session carol
session bob
session alice
secret bob
host variant store-ignores-canshow
launch
wait 2
expect main alice carol
shake
type 7351
press 确定
wait 2.5
expect main alice bob carol
shake
wait 1.5
expect main alice carol

quit
host variant list-through-logic
launch
wait 2
expect main alice carol
message bob hello
wait 1
expect main alice carol

quit
host variant session-key-first
launch
wait 2
expect main alice carol
