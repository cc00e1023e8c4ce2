# Secret chats stay off the main chat list while hidden, whatever the host does.
friend alice nick=Alice
friend bob nick=Bob
friend carol nick=Carol
room team@chatroom title=Team
session team@chatroom
session carol
session bob
session alice
secret bob
secret team@chatroom

# A cold start: the list the user first sees is already filtered.
launch
expect hidden
expect main alice carol
expect log "[QB] session hooks READY"

# Bob writes: his chat would jump to the top, but it stays out of sight.
message bob "are you there?"
expect main alice carol
session carol
expect main carol alice

# The list is reloaded again as the app settles, still without the secrets.
wait 2
expect main carol alice
expect log "[QB] softReload main force=0"

# Leaving and coming back changes nothing that is shown.
background
wait 60
foreground
wait 1
expect main carol alice

# Once bob is no longer secret, his next message brings his chat back.
unsecret bob
message bob "hello again"
expect main bob carol alice
quit
launch
expect main bob carol alice
