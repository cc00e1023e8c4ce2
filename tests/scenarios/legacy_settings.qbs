# A settings file from an old version: one authMode, one shakeToggle, the old
# show minute. It loads migrated, and is rewritten in the clean form only at the
# next save.
friend alice nick=Alice
friend bob nick=Bob
room team@chatroom title=Team
session alice
session team@chatroom
session bob
launch
expect hidden
expect main bob
expect file authMode 1
expect file shakeToggle false
expect file dailyShowMinute 600
# Any change in the panel saves the whole record.
setting longPressUnlock true
expect file panelAuthMode 1
expect file revealAuthMode 1
expect file authMode 1
expect file shakeHide false
expect file shakeShow false
expect file shakeToggle false
expect file password 2468
expect file backgroundNotify false
expect file dailyWindows [{start = 600; end = 1320; mode = 0}]
expect file secrets [alice team@chatroom]
wait 1
expect main bob
