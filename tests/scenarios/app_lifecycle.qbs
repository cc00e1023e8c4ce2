# The app's life on a simulated device: a cold start, time passing, leaving and
# returning to the foreground, and a second cold start on the same container.
clock 07:59
launch
wait 30
background
wait 600
foreground
quit
wait 5
launch
expect no-log "FATAL"
