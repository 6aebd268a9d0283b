//Maya ASCII 2011 scene
//Name: set.ma
//Codeset: 1252
file -rdi 1 -ns "level" -rfn "levelRN" "/show/references/level.ma";
file -rdi 2 -ns "prop" -rfn "level:propRN" "/show/references/prop.ma";
file -rdi 1 -ns "gone" -rfn "goneRN" "/show/references/gone.ma";
file -r -ns "level" -dr 1 -rfn "levelRN" "/show/references/level.ma";
file -r -ns "gone" -dr 1 -rfn "goneRN" "/show/references/gone.ma";
requires maya "2011";
currentUnit -l centimeter -a degree -t film;
createNode transform -n "wind";
	setAttr ".t" -type "double3" 7 0 0 ;
createNode fosterParent -n "levelRNfosterParent1";
createNode transform -n "lamp" -p "levelRNfosterParent1";
	setAttr ".ty" 2;
createNode reference -n "levelRN";
	setAttr ".fn[0]" -type "string" "/show/references/level.ma";
	setAttr -s 2 ".phl";
	setAttr ".phl[1]" 0;
	setAttr ".phl[2]" 0;
	setAttr ".ed" -type "dataReferenceEdits" 
		"levelRN"
		"levelRN" 0
		"level:propRN" 1
		2 "|level:table|level:prop:cup" "translateX" " 3"
		"levelRN" 5
		0 "|levelRNfosterParent1|lamp" "|level:table" "-s -r "
		1 |level:table "note" "note" " -ci 1 -dt \"string\""
		2 "|level:table" "note" " -type \"string\" \"oak\""
		5 4 "levelRN" "|level:ground.translateX" "levelRN.placeHolderList[1]" 
		""
		5 3 "levelRN" "|level:ground.translateX" "levelRN.placeHolderList[2]" 
		"";
createNode reference -n "goneRN";
	setAttr ".phl[1]" 0;
	setAttr ".ed" -type "dataReferenceEdits" 
		"goneRN"
		"goneRN" 1
		5 3 "goneRN" "|gone:sun.translateX" "goneRN.placeHolderList[1]" "";
select -ne :time1;
	setAttr ".o" 12;
connectAttr "wind.tx" "levelRN.phl[1]";
connectAttr "levelRN.phl[2]" "lamp.tz";
connectAttr "goneRN.phl[1]" "wind.tz";
// End of set.ma
