# The host app as some builds have it: no MMContext at all, and a contact
# lookup that raises. The library still starts, hidden, and logs no failure.
me wxid_me
friend alice nick=Alice remark=Ally
friend bob nick=Bob
room team@chatroom title=Team
host lacks MMContext
host lacks CContactMgr getSelfContact
host raises CContactMgr getContactByName:
session alice
session bob
secret alice
launch
expect hidden
expect no-log "FATAL"
wait 2
expect main bob
open contacts
expect contacts bob
open main
background
foreground
expect hidden
wait 1
expect main bob
