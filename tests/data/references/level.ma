//Maya ASCII 2011 scene
//Name: level.ma
//Codeset: 1252
file -rdi 1 -ns "prop" -rfn "propRN" "/show/references/prop.ma";
file -r -ns "prop" -dr 1 -rfn "propRN" "/show/references/prop.ma";
requires maya "2011";
currentUnit -l meter -a degree -t film;
createNode transform -n "table";
	setAttr ".t" -type "double3" 5 0 0 ;
createNode transform -n "ground";
createNode reference -n "propRN";
	setAttr ".fn[0]" -type "string" "/show/references/prop.ma";
	setAttr ".ed" -type "dataReferenceEdits" 
		"propRN"
		"propRN" 0
		"propRN" 2
		0 "|prop:cup" "|table" "-s -r "
		2 "|table|prop:cup" "scale" " -type \"double3\" 2 2 2";
// End of level.ma
