// Gives the person a file that the page has made.
export function save(name: string, type: string, content: string): void {
  const link = document.createElement('a');
  link.href = URL.createObjectURL(new Blob([content], { type }));
  link.download = name.replace(/[^\w.-]+/g, '_');
  link.click();
  setTimeout(() => {
    URL.revokeObjectURL(link.href);
  }, 1000);
}
