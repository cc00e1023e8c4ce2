# A host build that donates nothing and indexes nothing: nothing outside the
# app to clean, and nothing breaks.
host variant no-donations
friend alice nick=Alice
friend bob nick=Bob
session alice
session bob
secret bob
launch
send alice "hi"
send bob "hi"
expect suggestions
expect spotlight Alice
expect log "[QB] outside records: donations filtered, search index filtered"
secret alice
expect hidden
open contacts
expect contacts
