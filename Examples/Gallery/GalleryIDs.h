// Identifiers that the host and the scripts of its plug-ins share.
#ifndef GALLERY_IDS_H
#define GALLERY_IDS_H

#define ID_GREETING 100
#define ID_FIRST_CAPTION 200
#define ID_FIRST_PICTURE 300
#define PICTURES_OF_A_PLUG_IN 4

#endif
