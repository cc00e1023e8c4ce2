# A system search from the home screen finds the app's chats by their
# searchable items. A secret's chat is never found: its items are not
# indexed, and those indexed before it became secret are deleted.
friend alice nick=Alice
friend bob nick=Bob
friend bobby nick=Bobby
session alice
session bob
session bobby
launch
expect spotlight Bob bob bobby
expect spotlight Alice alice

secret bob
expect spotlight Bob bobby
expect spotlight Alice alice

# Revealed, and after a new chat: still not found.
shake
type 7351
press 确定
wait 1
expect revealed
friend dave nick=Dave
message dave "new chat"
expect spotlight Dave dave
expect spotlight Bob bobby

# After a cold start: the host indexes every chat again, bob's is left out.
quit
launch
expect spotlight Bob bobby
expect spotlight Alice alice

# Made secret while the app was not running: cleaned at the next start.
quit
secret alice
launch
expect spotlight Alice
expect spotlight Bob bobby
