// One request at a time for each key, and behind it only the latest: whoever drags a servo sends
// as fast as the hub answers, and ends where the hand ends.
export class Latest {
  private readonly next = new Map<string, (() => Promise<void>) | null>(); // of keys under way

  async run(key: string, task: () => Promise<void>): Promise<void> {
    if (this.next.has(key)) {
      this.next.set(key, task);
      return;
    }
    let last = Promise.resolve();
    for (let now: (() => Promise<void>) | null = task; now; now = this.next.get(key) ?? null) {
      this.next.set(key, null);
      last = now();
      await last.catch(() => undefined); // the latest comes behind a failure, too
    }
    this.next.delete(key);
    await last;
  }
}
