# Leaving the app right after typing the password: the secrets are hidden on
# return, whether the app left before the reveal landed or while it settled.
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
secret bob
launch
wait 2
shake
type 7351
press 确定
background
wait 3
foreground
wait 1
expect hidden
expect main alice

wait 1
shake
type 7351
press 确定
wait 0.6
expect revealed
background
expect hidden
foreground
wait 3
expect hidden
expect main alice

# Left alone, the same reveal stays.
wait 1
shake
type 7351
press 确定
wait 3
expect revealed
expect main alice bob
