# Secrets marked before launch and while running survive a restart; every
# launch starts hidden, whatever the last run ended in.
friend alice nick=Alice
friend bob nick=Bob
friend carol nick=Carol
room team@chatroom title=Team
session alice
session bob
session team@chatroom
session carol
secret alice
secret team@chatroom
launch
expect hidden
secret bob
unsecret team@chatroom
quit
launch
expect hidden
expect main carol team@chatroom
expect file secrets [alice bob]
setting secretNotifyMode 2
expect file backgroundNotify true
setting password 123
expect file password 7351
setting password 2468
expect file password 2468
quit
launch
expect hidden
expect main carol team@chatroom
