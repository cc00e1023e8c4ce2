# A list longer than the screen: the table shows the 20 rows that fit, and
# scrolling to the end and back, which asks for every other row, shows no
# hidden chat and leaves the rows on screen as they were.
friend u01
friend u02
friend u03
friend u04
friend u05
friend u06
friend u07
friend u08
friend u09
friend u10
friend u11
friend u12
friend u13
friend u14
friend u15
friend u16
friend u17
friend u18
friend u19
friend u20
friend u21
friend u22
friend u23
friend u24
session u24
session u23
session u22
session u21
session u20
session u19
session u18
session u17
session u16
session u15
session u14
session u13
session u12
session u11
session u10
session u09
session u08
session u07
session u06
session u05
session u04
session u03
session u02
session u01
launch
wait 1
expect main u01 u02 u03 u04 u05 u06 u07 u08 u09 u10 u11 u12 u13 u14 u15 u16 u17 u18 u19 u20
secret u03
secret u22
expect main u01 u02 u04 u05 u06 u07 u08 u09 u10 u11 u12 u13 u14 u15 u16 u17 u18 u19 u20 u21
scroll main
expect main u01 u02 u04 u05 u06 u07 u08 u09 u10 u11 u12 u13 u14 u15 u16 u17 u18 u19 u20 u21
expect hidden
message u24 hello
expect main u24 u01 u02 u04 u05 u06 u07 u08 u09 u10 u11 u12 u13 u14 u15 u16 u17 u18 u19 u20
scroll main
expect hidden
