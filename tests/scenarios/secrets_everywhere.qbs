# A secret friend is on no screen from the first launch: not in the contacts
# list, not in contact search, not in Moments, not in the forward row or the
# forward picker. The password brings Bob back everywhere; leaving the app
# hides him everywhere again.
friend alice nick=Alice
friend bob nick=Bob remark=Boss
friend carol nick=Carol
room team@chatroom title=Team
session team@chatroom
session carol
session bob
session alice
moment alice "at the beach"
moment bob "new job!"
moment carol "coffee"
secret bob
launch
wait 2

open contacts
expect screen contacts
expect contacts alice carol
open search o
expect screen search
expect search carol
open moments
expect screen moments
expect moments carol alice
open forward
expect screen forward
expect forward alice carol team@chatroom

# The password reveals: the contacts list reloads by itself, the other
# screens show Bob the next time they open.
shake
type 7351
press 确定
wait 3
expect revealed
open contacts
expect contacts alice bob carol
open search o
expect search bob carol
open moments
expect moments carol bob alice
open forward
expect forward alice bob carol team@chatroom

# Leaving the app hides again.
background
expect hidden
foreground
wait 1
open contacts
expect contacts alice carol
open search o
expect search carol
open moments
expect moments carol alice
open forward
expect forward alice carol team@chatroom
