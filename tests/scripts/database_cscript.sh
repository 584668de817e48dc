#!/bin/bash
# The database server as other programs use it: a script of the platform's own language makes a database through the
# program identifiers, fills it and reads it.
set -u
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
folder="Z:${work//\//\\}"

cat >use.vbs <<SCRIPT
Dim connection, record, rows, count, text, code, i, exists
Set connection = CreateObject("Tessary.DatabaseConnection.1")
WScript.Echo "version " & connection.Version
WScript.Echo "created " & connection.CreateDatabase("$folder\\plan.qn")
WScript.Echo "opened " & (connection.OpenDatabase("$folder\\plan.qn", False, False) = "$folder\\plan.qn")
WScript.Echo "table " & connection.CreateTable("Part", _
    Array("*RTLB*", "sName", "TEXT", 20, "*RTLE*", "*RTLB*", "dSize", "DOUBLE", "*RTLE*"))
WScript.Echo "selected " & connection.SelectTable("Part", "")
For i = 1 To 3
    connection.Append Array("sName", "duct " & i, "dSize", i / 2), False, record
    WScript.Echo record(0) & "=" & record(1) & " " & record(2) & "=" & record(3)
Next
WScript.Echo "rows " & connection.RunSql("SELECT sName FROM Part WHERE dSize > 0.6 ORDER BY sName DESC", rows)
For i = 0 To UBound(rows)
    WScript.Echo rows(i)
Next
WScript.Echo "counted " & connection.Count(count) & " " & count
WScript.Echo "there " & connection.TableExists("part", exists) & " " & exists
WScript.Echo "skipped " & connection.Skip(1, record)
connection.GetError code, text
WScript.Echo "error " & code & " " & text
SCRIPT

cat >expected.txt <<'TEXT'
version 1
created True
opened True
table True
selected True
sName=duct 1 dSize=0.5
sName=duct 2 dSize=1
sName=duct 3 dSize=1.5
rows True
*NewRecord*
sName
duct 3
*NewRecord*
sName
duct 2
counted True 3
there True True
skipped False
error 3021 No current record.
TEXT

# Into a file: a pipe would stay open as long as the server.
"$TESSARY_WINE" cscript.exe //nologo "$folder\\use.vbs" >output.txt 2>&1 </dev/null
tr -d '\r' <output.txt | diff expected.txt -
