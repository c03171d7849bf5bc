// Text frames of a WebSocket, as far as a test needs them: whole messages, no pings.

export function frame(text: string): Buffer {
  const body = Buffer.from(text);
  const head = Buffer.alloc(body.length < 126 ? 2 : body.length < 65_536 ? 4 : 10);
  head[0] = 0x81;
  if (body.length < 126) head[1] = body.length;
  else if (body.length < 65_536) {
    head[1] = 126;
    head.writeUInt16BE(body.length, 2);
  } else {
    head[1] = 127;
    head.writeBigUInt64BE(BigInt(body.length), 2);
  }
  return Buffer.concat([head, body]);
}

// The texts of a browser's frames, which are masked, and what is left of an unfinished one.
export function textsIn(bytes: Buffer): { texts: string[]; left: Buffer } {
  const texts: string[] = [];
  let left = bytes;
  for (;;) {
    const short = (left[1] ?? 0) & 0x7f;
    const start = short === 126 ? 4 : 2;
    if (left.length < start + 4) break;
    const length = short === 126 ? left.readUInt16BE(2) : short;
    if (left.length < start + 4 + length) break;
    const mask = left.subarray(start, start + 4);
    const body = Buffer.from(left.subarray(start + 4, start + 4 + length));
    for (const [place, byte] of body.entries()) body[place] = byte ^ (mask[place % 4] ?? 0);
    if (((left[0] ?? 0) & 0x0f) === 1) texts.push(body.toString());
    left = left.subarray(start + 4 + length);
  }
  return { texts, left };
}
