# What is and is not caught. A host that donates nothing leaves nothing to
# catch. A host that names chats by display name: its searchable items are
# still caught (the title is exactly the contact's display name), its
# donations are not (they never carry the username).
host variant donate-by-name
friend alice nick=Alice
friend bob nick=Bob
session alice
session bob
launch
send bob "hi"
send alice "hi"
expect suggestions alice bob
expect spotlight Bob bob
secret bob
expect spotlight Bob
# Deleting by group needs a group seen to name bob; none did, so every
# donation of the app went once.
expect suggestions
send bob "by name"
send alice "again"
expect suggestions alice bob
