// Our own characters for the glass: 5 x 8 dots each, printable ASCII from blank to "~". Each is
// eight rows, top first, written as the five bits of a row from left to right in base 32: "0" is
// no dot, "v" is all five, "g" the leftmost alone, "1" the rightmost. The last row is below the
// base line.

export const fontWidth = 5;
export const fontHeight = 8;

const first = 0x20;

const glyphs = `
  00000000 44440040 aaa00000 aavavaa0 4fke5u40 op248j30 cik8lid0 44800000
  24888420 84222480 04lel400 044v4400 0000c448 000v0000 00000cc0 01248g00
  ehjlphe0 4c4444e0 eh1248v0 v2421he0 26aiv220 vgu11he0 68guhhe0 v1248880
  ehhehhe0 ehhf12c0 0cc0cc00 0cc0c480 248g8420 00v0v000 84212480 eh124040
  eh1dlle0 ehhhvhh0 uhhuhhu0 ehggghe0 sihhhis0 vgguggv0 vgguggg0 ehgnhhf0
  hhhvhhh0 e44444e0 72222ic0 hikokih0 ggggggv0 hrllhhh0 hhpljhh0 ehhhhhe0
  uhhuggg0 ehhhlid0 uhhukih0 fgge11u0 v4444440 hhhhhhe0 hhhhha40 hhhllla0
  hha4ahh0 hhha4440 v1248gv0 e88888e0 0g842100 e22222e0 4ah00000 000000v0
  84200000 00e1fhf0 ggmphhu0 00egghe0 11djhhf0 00ehvge0 698s8880 00fhhf1e
  ggmphhh0 40c444e0 206222ic ggikoki0 c44444e0 00qlllh0 00mphhh0 00ehhhe0
  00uhhugg 00djhf11 00mpggg0 00ege1u0 88s88960 00hhhjd0 00hhha40 00hhlla0
  00ha4ah0 00hhhf1e 00v248v0 24484420 44444440 84424480 008l2000
`;

export const glyphRows: readonly (readonly number[])[] = parse(glyphs);

function parse(packed: string): number[][] {
  return packed
    .trim()
    .split(/\s+/)
    .map((glyph) => Array.from(glyph, (row) => parseInt(row, 32)));
}

// The rows of a character; a blank for what the glass cannot print.
export function rowsOf(character: string): readonly number[] {
  return glyphRows[(character.codePointAt(0) ?? first) - first] ?? glyphRows[0] ?? [];
}
