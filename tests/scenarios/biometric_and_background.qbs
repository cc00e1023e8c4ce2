# Face ID for revealing: a failed check reveals nothing and does not fall back
# to the password; a passed one reveals. The prompt makes the app resign
# active without hiding again; really leaving the app hides, even within the
# 2 s after a reveal.
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
expect hidden
expect log "[QB] auto-lock UISceneDidEnterBackgroundNotification"
foreground
wait 2
expect main alice
wait 1
shake
biometric pass
wait 2.5
expect revealed
background
expect hidden
expect log "[QB] auto-lock UISceneWillDeactivateNotification"
foreground
wait 1
expect main alice

# Leaving while the prompt is up cancels it: the check fails, nothing shows.
wait 1
shake
expect screen biometric
background
foreground
wait 1
expect hidden
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
wait 2
expect main alice bob
