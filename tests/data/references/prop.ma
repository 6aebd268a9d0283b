//Maya ASCII 2011 scene
//Name: prop.ma
//Codeset: 1252
requires maya "2011";
currentUnit -l centimeter -a degree -t film;
createNode transform -n "cup";
	setAttr ".t" -type "double3" 1 1 1 ;
createNode multiplyDivide -n "twice";
	setAttr ".i2" -type "float3" 2 1 1 ;
select -ne :time1;
	setAttr ".o" 99;
connectAttr "twice.ox" "cup.ry";
connectAttr "cup.tx" "twice.i1x";
// End of prop.ma
