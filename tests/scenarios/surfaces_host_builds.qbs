# Host builds that differ: a contact search whose data provider hands back an
# immutable dictionary, a host without the contact-tag search, and one whose
# Moments items fail when asked for their author. The screens all draw; a
# failure shows the secret rather than breaking the screen.
friend alice nick=Alice
friend bob nick=Bob
moment bob hi
moment alice hello
secret bob
host variant fts-immutable
host lacks ContactTagSearchFromContactLogic
host raises WCDataItem username
launch
expect log "[QB] hooked FTSContactDataProvider getDicContacts"
expect log "[QB] extra hooks: contacts/moments/forward OK"
expect log "[QB][stable] contact hooks DISABLED"
open search b
expect search
open search a
expect search alice
open moments
expect screen moments
expect moments alice bob
