// Identifiers of the browser's commands and controls; read by the resource compiler and by C++.
#pragma once

#define IDR_BROWSE 100
#define IDR_PRESETS 400 // and above

#define IDM_OPEN 201
#define IDM_SAVE 202
#define IDM_LOAD_STACK 203
#define IDM_SAVE_STACK 204
#define IDM_EXIT 205
#define IDM_UNDO 211
#define IDM_REDO 212
#define IDM_ADD 213
#define IDM_REMOVE 214
#define IDM_UP 215
#define IDM_DOWN 216
#define IDM_SWITCH 217
#define IDM_RESET 218
#define IDM_DIVIDER_LEFT 221
#define IDM_DIVIDER_MIDDLE 222
#define IDM_DIVIDER_RIGHT 223
#define IDM_ENLARGE 224
#define IDM_COMPARE 225
#define IDM_FIT 226
#define IDM_ACTUAL_SIZE 227
#define IDM_ZOOM_IN 228
#define IDM_ZOOM_OUT 229
#define IDM_PLAY 231
#define IDM_STEP_BACK 232
#define IDM_STEP_FORWARD 233
#define IDM_TO_START 234
#define IDM_COLOURS_BY_SIZE 235
#define IDM_BT601 236
#define IDM_BT709 237
#define IDM_LIMITED_RANGE 238
#define IDM_FULL_RANGE 239
#define IDM_ABOUT 241
#define IDM_EFFECT_HELP 242
#define IDM_RECENT 251
#define IDM_SAVE_PRESET 252
#define IDM_LANGUAGE 1000    // and above, one per language
#define IDM_RECENT_FILE 1100 // and above, one per file
#define IDM_PRESET 1200      // and above: what ships, then the user's own

#define IDC_TREE 301
#define IDC_STACK 302
#define IDC_PREVIEW 303
#define IDC_SEEK 304
#define IDC_STATUS 305
