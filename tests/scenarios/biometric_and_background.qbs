# Face ID for revealing: a failed check reveals nothing and does not fall back
# to the password; a passed one reveals. Leaving the app hides again, but not
# within the 2 s after a reveal (the prompt itself makes the app resign).
friend alice nick=Alice
friend bob nick=Bob
session bob
session alice
secret bob
setting revealAuthMode 1
launch
wait 2
shake
expect screen biometric
biometric fail
wait 1
expect hidden
expect screen main
wait 1
shake
biometric pass
wait 1
expect revealed
background
expect revealed
foreground
wait 2
background
expect hidden
expect log "[QB] auto-lock UISceneWillDeactivateNotification"
foreground
wait 1
expect main alice

# A device without biometrics asks for the password instead.
quit
device biometrics none
launch
wait 2
shake
expect screen alert
type 7351
press 确定
wait 1
expect revealed
