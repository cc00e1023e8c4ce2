# A cold start with no settings file: nothing is written until the first
# change, which writes every key with its default.
friend alice nick=Alice
friend bob nick=Bob
session alice
session bob
launch
expect hidden
expect main bob alice
secret alice
expect hidden
expect file secrets [alice]
expect file password 7351
expect file shakeToggle true
expect file shakeHide true
expect file shakeShow true
expect file showNeedsAuth true
expect file longPressUnlock true
expect file passwordFallback true
expect file panelAuthMode 0
expect file revealAuthMode 0
expect file authMode 0
expect file secretNotifyMode 0
expect file backgroundNotify false
expect file voipVoiceNotify false
expect file voipVideoNotify false
expect file visibilityControl 0
expect file dailyWindows [{start = 480; end = 1320; mode = 0}]
wait 1
expect main bob
