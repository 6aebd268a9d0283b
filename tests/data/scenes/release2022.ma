//Maya ASCII 2022 scene
//Name: release2022.ma
//Codeset: UTF-8
requires maya "2022";
currentUnit -l centimeter -a degree -t pal;
fileInfo "UUID" "0A1B2C3D-4455-6677-8899-AABBCCDDEEFF";
createNode transform -n "box";
	rename -uid "A0000000-0000-0000-0000-000000000001";
	setAttr ".s" -type "double3" 2 2 2 ;
createNode mesh -n "boxShape" -p "box";
	rename -uid "A0000000-0000-0000-0000-000000000002";
	setAttr -k off ".v";
	setAttr ".vir" yes;
	setAttr -s 2 ".uvst";
	setAttr ".uvst[0].uvsn" -type "string" "map1";
	setAttr -s 14 ".uvst[0].uvsp[0:13]" -type "float2" 0.375 0 0.625 0 0.375 0.25
		 0.625 0.25 0.375 0.5 0.625 0.5 0.375 0.75 0.625 0.75 0.375 1 0.625 1 0.875 0 0.875
		 0.25 0.125 0 0.125 0.25;
	setAttr ".uvst[1].uvsn" -type "string" "light";
	setAttr -s 4 ".uvst[1].uvsp[0:3]" -type "float2" 0 0 1 0 1 1 0 1;
	setAttr ".cuvs" -type "string" "light";
	setAttr -s 8 ".vt[0:7]"  -0.5 -0.5 0.5 0.5 -0.5 0.5 -0.5 0.5 0.5 0.5 0.5 0.5
		 -0.5 0.5 -0.5 0.5 0.5 -0.5 -0.5 -0.5 -0.5 0.5 -0.5 -0.5;
	setAttr -s 12 ".ed[0:11]"  0 1 0 2 3 0 4 5 0 6 7 0
		 0 2 0 1 3 0 2 4 0 3 5 1 4 6 0 5 7 0 6 0 0 7 1 0;
	setAttr -s 6 -ch 24 ".fc[0:5]" -type "polyFaces" 
		f 4 0 5 -2 -5
		mu 0 4 0 1 3 2
		mu 1 4 0 1 2 3
		f 4 1 7 -3 -7
		mu 0 4 2 3 5 4
		f 4 2 9 -4 -9
		mu 0 4 4 5 7 6
		f 4 3 11 -1 -11
		mu 0 4 6 7 9 8
		f 4 -12 -10 -8 -6
		mu 0 4 1 10 11 3
		f 4 10 4 6 8
		mu 0 4 12 0 2 13;
	setAttr ".cd" -type "dataPolyComponent" Index_Data Edge 0 ;
	setAttr ".cvd" -type "dataPolyComponent" Index_Data Vertex 0 ;
	setAttr ".pd[0]" -type "dataPolyComponent" Index_Data UV 0 ;
	setAttr ".hfd" -type "dataPolyComponent" Index_Data Face 0 ;
createNode lightLinker -s -n "lightLinker1";
	rename -uid "A0000000-0000-0000-0000-000000000003";
	setAttr -s 3 ".lnk";
createNode shapeEditorManager -n "shapeEditorManager";
	rename -uid "A0000000-0000-0000-0000-000000000004";
createNode lambert -n "blue";
	rename -uid "A0000000-0000-0000-0000-000000000005";
	setAttr ".c" -type "float3" 0 0 1 ;
createNode shadingEngine -n "blueSG";
	rename -uid "A0000000-0000-0000-0000-000000000006";
	setAttr ".ihi" 0;
	setAttr ".ro" yes;
createNode materialInfo -n "materialInfo1";
	rename -uid "A0000000-0000-0000-0000-000000000007";
select -ne :time1;
	setAttr ".o" 0;
select -ne :initialShadingGroup;
	setAttr ".ro" yes;
lockNode -l 0 -lu 1;
select -ne :defaultResolution;
	setAttr ".pa" 1;
	setAttr -av ".w" 1920;
connectAttr "blue.oc" "blueSG.ss";
connectAttr "boxShape.iog" "blueSG.dsm" -na;
connectAttr "blueSG.msg" "materialInfo1.sg";
connectAttr "blue.msg" "materialInfo1.m";
connectAttr "blueSG.pa" ":renderPartition.st" -na;
connectAttr "blue.msg" ":defaultShaderList1.s" -na;
// End of release2022.ma
