# A settings file cut short in the middle of the secret list: the app starts
# with every default, keeps the file aside under a dated name, and the first
# change writes a new one beside it.
friend alice nick=Alice
session alice
launch
expect hidden
expect main alice
expect log "[QB] config unreadable, kept aside as "
expect log "/Documents/Quenby/config-2"
expect no-log "alice"
setting longPressUnlock false
expect file longPressUnlock false
expect file password 7351
expect file secrets []
expect no-log "config save failed"
expect main alice
