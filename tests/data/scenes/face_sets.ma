//Maya ASCII 2011 scene
//Name: face_sets.ma
//Codeset: 1252
requires maya "2011";
currentUnit -l centimeter -a degree -t film;
createNode transform -n "pPlane1";
createNode mesh -n "pPlaneShape1" -p "pPlane1";
	setAttr -k off ".v";
	setAttr -s 3 ".iog[0].og";
	setAttr ".iog[0].og[0].gcl" -type "componentList" 1 "f[0]";
	setAttr ".iog[0].og[1].gcl" -type "componentList" 1 "f[1]";
	setAttr ".iog[0].og[2].gcl" -type "componentList" 2 "vtx[0:1]" "vtx[4]";
	setAttr ".vir" yes;
	setAttr ".vif" yes;
	setAttr ".uvst[0].uvsn" -type "string" "map1";
	setAttr ".cuvs" -type "string" "map1";
	setAttr -s 6 ".vt[0:5]"  -1 0 1 0 0 1 1 0 1 -1 0 -1 0 0 -1 1 0 -1;
	setAttr -s 7 ".ed[0:6]"  0 1 0 1 2 0 3 4 0 4 5 0 0 3 0 1 4 0 2 5 0;
	setAttr -s 2 ".fc[0:1]" -type "polyFaces" 
		f 4 0 5 -3 -5 
		f 4 1 6 -4 -6 ;
createNode groupId -n "groupId1";
	setAttr ".ihi" 0;
createNode groupId -n "groupId2";
	setAttr ".ihi" 0;
createNode groupId -n "groupId3";
	setAttr ".ihi" 0;
createNode lambert -n "lambert2";
createNode shadingEngine -n "lambert2SG";
	setAttr ".ihi" 0;
	setAttr ".ro" yes;
createNode materialInfo -n "materialInfo1";
createNode objectSet -n "set1";
	setAttr ".ihi" 0;
connectAttr "groupId1.id" "pPlaneShape1.iog.og[0].gid";
connectAttr ":initialShadingGroup.mwc" "pPlaneShape1.iog.og[0].gco";
connectAttr "groupId2.id" "pPlaneShape1.iog.og[1].gid";
connectAttr "lambert2SG.mwc" "pPlaneShape1.iog.og[1].gco";
connectAttr "groupId3.id" "pPlaneShape1.iog.og[2].gid";
connectAttr "set1.mwc" "pPlaneShape1.iog.og[2].gco";
connectAttr "lambert2.oc" "lambert2SG.ss";
connectAttr "groupId2.msg" "lambert2SG.gn" -na;
connectAttr "pPlaneShape1.iog.og[1]" "lambert2SG.dsm" -na;
connectAttr "lambert2SG.msg" "materialInfo1.sg";
connectAttr "lambert2.msg" "materialInfo1.m";
connectAttr "groupId3.msg" "set1.gn" -na;
connectAttr "pPlaneShape1.iog.og[2]" "set1.dsm" -na;
connectAttr "pPlaneShape1.iog.og[0]" ":initialShadingGroup.dsm" -na;
connectAttr "groupId1.msg" ":initialShadingGroup.gn" -na;
// End of face_sets.ma
