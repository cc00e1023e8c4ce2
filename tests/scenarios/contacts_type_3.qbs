# A host build that lists the user's contacts under contact type 3 only, with
# no other list to fall back on: the picker still offers every friend.
friend alice nick=Alice
friend bob nick=Bob remark=老板
session bob
session alice
host variant contacts-type-3
host lacks ContactsDataLogic
host lacks CContactMgr getAllContactUserName
launch
wait 2
open about
wait 1
tap version
tap version
tap version
tap version
tap version
type 7351
press 确定
wait 1
expect screen panel
panel tap 7 0
expect screen picker
picker pick alice
picker pick bob
picker back
expect rows 7 3
expect file secrets [alice bob]
panel done
wait 1
expect hidden
