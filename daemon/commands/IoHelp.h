// What the console's HELP and IOEXAMPLES say of the IO language, a line of the client's
// screen each.
//
// Client programs compare the texts: they stay as they are, misspellings included.
#pragma once

#include <array>

// clang-format off
inline constexpr auto kIoHelp = std::to_array<const char*>({
    "***** COMMANSDS OF IO INTERFACE *****",
    "--Driver commands--",
    " - EXIT               exits from IO interface",
    " ",
    "--Block device commands--",
    "- Example: aAbBdDD",
    "    A is address of the card  (A=0..F)",
    "    B is number of the block  (B=0..7)",
    "    DD is block data  (DD=00..FF)",
    " ",
    "--Stream device commands--",
    " - Example:  aAstream",
    "    A is address of the card  (A=0..F)",
    " ",
    "   LCD streams:",
    "    - lPApXXYYtTEXT    displays TEXT on LCD at position XX,YY",
    "    - lCL              clears LCD display",
    "    - lLO              switches on LCD backlight",
    "    - lLF              switches off LCD backlight",
    "    - lCO              switches on LCD cursor",
    "    - lCF              switches off LCD cursor",
    "    - lBO              switches on LCD cursor blinking",
    "    - lBF              switches off LCD cursor blinking",
    "   IR remote controller streams",
    "    - sHSH1H2H3....Hn  sends hexa stream via IR (H1..Hn=00..FF) (n max 23)",
    "***** END OF IO INTERFACE COMMAND LIST *****",
});
static_assert(kIoHelp.size() == 26);

inline constexpr auto kIoExamples = std::to_array<const char*>({
    "BLOCK DEVICE OUTPUT EXAMPLES:",
    "1. To switch on led 2 in block 1 on digital out card addressed to 0x5:",
    "     Type command 'a5b1dFB<enter>' into IO interface",
    "2. To switch off led 2 in block 1 on digital out card addressed to 0x5:",
    "     Type command 'a5b1dFF<enter>' into IO interface",
    "3. To move servo at channel 4 to middle position on RC servo controller card addressed to 0x0:",
    "     Type command 'a0b4d80<enter>' into IO interface: ",
    "STREAM DEVICE OUTPUT EXAMPLES:",
    "1. To clear LCD (attached to controller card addressed at 0xE) and display ",
    "   'Tail of the cat' at 4th position in second line:",
    "     First type command 'aElCL<enter>' into IO interface",
    "     Than type command 'aElPAp0301tTail of the cat<enter>' into IO interface",
    "2. To send stream 'COCKROACH' via IRRC card addressed to 0x9:",
    "     Type command 'a9sHS434F434B524F414348<enter>' into IO interface:",
    "BLOCK DEVICE INPUT EXAMPLES:",
    "1. If you push button 6 in block 0 on digital input card adressed to 0x3:",
    "     Input change comes on IO interface: a3b0d40",
    "2. If you release button 6 in block 0 on digital input card adressed to 0x3:",
    "    Input change comes on IO interface: a3b0d00",
    "3. Turn the potentiometer connected to channel 3 from one end position to another one, on",
    "   analogue input card adressed to 0xF:",
    "    To have changes on IO interface: aFb3d00 ... aFb3d20 ........... aFb3dFF",
});
// clang-format on
static_assert(kIoExamples.size() == 22);
