# Modes 1 and 2 while the app is suspended: mode 1 presents a secret's
# message without its sound and with one vibration; mode 2 leaves it alone.
friend alice nick=Alice
friend bob nick=Bob
secret bob
setting secretNotifyMode 1
launch
background
wait 30
expect app suspended
message bob "quiet"
expect banner bob
expect no-sound bob
expect vibration bob
expect lockscreen bob
message alice "loud"
expect sound alice
expect no-vibration alice
foreground
setting secretNotifyMode 2
background
wait 30
expect app suspended
message bob "as ever"
expect banner bob
expect sound bob
expect no-vibration bob
