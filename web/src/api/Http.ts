// Requests that are not for the WebSocket: the session, whose answers bring and end the cookie.
import { text } from '../text/text.js';
import { isProblem, Refusal, unreached } from './Refusal.js';

export interface Answer {
  json: unknown;
  asked: number; // ms, this machine's clock
  date: number | null; // ms, the hub's clock, down to a whole second
}

export async function request(verb: string, path: string, body?: object): Promise<Answer> {
  const init: RequestInit = { method: verb, credentials: 'same-origin', cache: 'no-store' };
  if (body !== undefined) {
    init.headers = { 'Content-Type': 'application/json' };
    init.body = JSON.stringify(body);
  }
  const asked = Date.now();
  let answer: Response;
  try {
    answer = await fetch(path, init);
  } catch {
    throw unreached(text.reach.noAnswer);
  }
  const json: unknown = await answer.json().catch(() => null);
  const date = Date.parse(answer.headers.get('Date') ?? '');
  if (answer.ok) return { json, asked, date: Number.isNaN(date) ? null : date };
  if (isProblem(json)) throw new Refusal(json);
  const { status, statusText } = answer;
  throw new Refusal({ title: statusText, status, detail: statusText, where: null });
}
