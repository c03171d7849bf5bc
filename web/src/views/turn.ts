// Turns to be drawn for the first time: some elements with each frame, so that none takes long and
// what stands first can be used while the rest is still being drawn.
const atOnce = 3;
const waiting: (() => void)[] = [];

export function turn(): Promise<void> {
  return new Promise((resolve) => {
    if (waiting.push(resolve) === 1) requestAnimationFrame(next);
  });
}

function next(): void {
  for (const go of waiting.splice(0, atOnce)) go();
  if (waiting.length > 0) requestAnimationFrame(next);
}
