// Requests that are not for the WebSocket: the session, whose answers bring and end the cookie.
import { text } from '../text/text.js';
import { isProblem, Refusal, unreached } from './Refusal.js';

export async function request(verb: string, path: string, body?: object): Promise<unknown> {
  const init: RequestInit = { method: verb, credentials: 'same-origin', cache: 'no-store' };
  if (body !== undefined) {
    init.headers = { 'Content-Type': 'application/json' };
    init.body = JSON.stringify(body);
  }
  let answer: Response;
  try {
    answer = await fetch(path, init);
  } catch {
    throw unreached(text.reach.noAnswer);
  }
  const json: unknown = await answer.json().catch(() => null);
  if (answer.ok) return json;
  if (isProblem(json)) throw new Refusal(json);
  const { status, statusText } = answer;
  throw new Refusal({ title: statusText, status, detail: statusText, where: null });
}
