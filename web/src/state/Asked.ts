// What a hand has asked for last: till the hub has had the time to answer, the next press goes on
// from there, and not from what is known.
const answerTime = 800; // ms

export class Asked<Value> {
  private last: { value: Value; time: number } | null = null;

  note(value: Value, now = Date.now()): void {
    this.last = { value, time: now };
  }

  or(known: Value, now = Date.now()): Value {
    return this.last && now - this.last.time < answerTime ? this.last.value : known;
  }
}
