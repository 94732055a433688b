// Identifiers shared by the host and the resource scripts of its plug-ins.
#ifndef GALLERY_IDS_H
#define GALLERY_IDS_H

#define ID_GREETING 100
#define ID_FIRST_CAPTION 200
#define ID_FIRST_PICTURE 300
#define PICTURES_OF_A_PLUG_IN 4

#endif
