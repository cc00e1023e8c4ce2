# A secret's messages follow the notify mode while the secrets are hidden:
# 0 nothing at all, 1 the banner with a vibration but never a sound, 2 as
# anyone's. Revealed, they are announced like anyone's. Other chats are
# never touched, in the app or in the background.
friend alice nick=Alice
friend bob nick=Bob
session alice
session bob
secret bob
launch
expect log "[QB] notify+CallKit only (no invite hooks)"

# Mode 0 (the default): nothing in the app...
message alice "lunch?"
expect banner alice
expect sound alice
message bob "are you free?"
expect no-banner bob
expect no-sound bob
expect no-vibration bob

# ...and nothing on the lock screen.
background
message bob "call me"
expect no-banner bob
expect no-sound bob
expect log "[QB] block OnShowPush (hidden secret bg)"
message alice "still there?"
expect banner alice
expect sound alice
foreground

# Mode 1: shown, felt, not heard.
setting secretNotifyMode 1
message bob "ping"
expect banner bob
expect no-sound bob
expect vibration bob
background
message bob "ping again"
expect banner bob
expect no-sound bob
expect vibration bob
foreground

# Mode 2: like anyone.
setting secretNotifyMode 2
message bob "ring"
expect banner bob
expect sound bob

# Revealed, mode 0 changes nothing.
setting secretNotifyMode 0
shake
type 7351
press 确定
wait 1
expect revealed
message bob "hello again"
expect banner bob
expect sound bob

# Inside Bob's chat his message takes only the sound path.
open chat bob
message bob "here"
expect no-banner bob
expect sound bob
show notices
