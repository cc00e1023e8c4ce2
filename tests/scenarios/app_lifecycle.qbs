# The app's life on a simulated device: a cold start, time passing, leaving and
# returning to the foreground, and a second cold start on the same container
# that still hides the secret kept in it.
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
secret bob
clock 07:59
launch
expect hidden
expect main alice
wait 30
expect hidden
background
wait 600
foreground
expect hidden
quit
wait 5
launch
expect no-log "FATAL"
wait 2
expect hidden
expect main alice
