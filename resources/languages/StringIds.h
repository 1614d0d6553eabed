// Identifiers of the texts; read by the resource compiler and by C++.
#pragma once

// Effects and their groups, as a host lists them.
#define IDS_MULTIPLY_PIXEL 529
#define IDS_GAMMA_CORRECTION 530
#define IDS_DETECT_EDGES 531
#define IDS_EMBOSS 532
#define IDS_ENHANCE_DETAILS 533
#define IDS_ENHANCE_EDGES 534
#define IDS_ENHANCE_FOCUS 535
#define IDS_LIGHT_EDGES 536
#define IDS_SHIFT_EDGES 537
#define IDS_SOFTEN_FILTER 538
#define IDS_FILTER_COLOR 539
#define IDS_GROUP_COLOR_FILTER 540
#define IDS_INVERT_COLOR 541
#define IDS_ADD_PIXEL 542
#define IDS_GROUP_EDGES 543
#define IDS_GROUP_SHARPNESS 544

// Settings panels: labels, check boxes, list entries, and (TIP) tooltips.
#define IDS_RED 700
#define IDS_GREEN 701
#define IDS_BLUE 702
#define IDS_TIP_SLIDER 703
#define IDS_SELECT_COLOR 704
#define IDS_SELECT_INTENSITY 705
#define IDS_MOVE_ALL_SLIDERS 708
#define IDS_TIP_SHIFT_HORIZONTAL 709
#define IDS_GAMMA_LABEL 710
#define IDS_BRIGHTER 711
#define IDS_DARKER 712
#define IDS_HORIZONTAL 713
#define IDS_VERTICAL 714
#define IDS_TIP_MOVE_ALL_SLIDERS 715
#define IDS_TIP_INVERT_GREEN 716
#define IDS_TIP_INVERT_BLUE 717
#define IDS_TIP_SHIFT_VERTICAL 718
#define IDS_TIP_SELECT_COLOR 719
#define IDS_MULTIPLY_FACTOR 720
#define IDS_CHOOSE_DIRECTION 721
#define IDS_TIP_INVERT_RED 723
