# The host app as some builds have it: no MMContext at all, and a contact
# lookup that raises. The library still starts, hidden, and logs no failure.
me wxid_me
friend alice nick=Alice remark=Ally
friend bob nick=Bob
room team@chatroom title=Team
session alice
session bob
host lacks MMContext
host lacks CContactMgr getSelfContact
host raises CContactMgr getContactByName:
secret alice
launch
expect hidden
expect no-log "FATAL"
background
foreground
expect hidden
expect main bob
